# Everything that is installed and called, in one place. docs/choices.md says why each is here.
find_package(Qt5 5.15 REQUIRED COMPONENTS Core Gui Widgets Network Xml LinguistTools)
find_package(Boost 1.74 REQUIRED)
find_package(LibArchive 3.6 REQUIRED)
find_package(Threads REQUIRED)

if(SOFTWAREUPDATECLIENT_BUILD_TESTS)
  find_package(Qt5 5.15 REQUIRED COMPONENTS Test)
endif()
if(SOFTWAREUPDATECLIENT_BUILD_TOOLS OR SOFTWAREUPDATECLIENT_BUILD_TESTS
   OR SOFTWAREUPDATECLIENT_BUILD_EXAMPLES)
  find_package(PkgConfig REQUIRED)
  pkg_check_modules(httplib REQUIRED IMPORTED_TARGET cpp-httplib)
endif()
if(SOFTWAREUPDATECLIENT_BUILD_BENCHMARKS)
  find_package(benchmark REQUIRED)
endif()
