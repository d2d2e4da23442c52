# Everything that is installed and called. docs/choices/dependencies.md says why each is here.
include(QtChoice)
find_package(${VX_QT} ${VX_QT_VERSION} REQUIRED
  COMPONENTS Core Gui Widgets Network Xml LinguistTools ${VX_QT_EXTRA_COMPONENTS})
find_package(Boost 1.74 REQUIRED)
find_package(Threads REQUIRED)
find_package(PkgConfig REQUIRED)
pkg_check_modules(isal REQUIRED IMPORTED_TARGET libisal>=2.30)
pkg_check_modules(sodium REQUIRED IMPORTED_TARGET libsodium)
find_package(OpenSSL 3.0 REQUIRED COMPONENTS Crypto)

if(SOFTWAREUPDATECLIENT_BUILD_TESTS)
  find_package(${VX_QT} ${VX_QT_VERSION} REQUIRED COMPONENTS Test)
  # One folder for all: they share a precompiled header, for which their macros must be the same.
  set_property(TARGET ${VX_QT}::Test PROPERTY INTERFACE_COMPILE_DEFINITIONS
    QT_TESTLIB_LIB "QT_TESTCASE_BUILDDIR=\"${PROJECT_BINARY_DIR}\"")
endif()
if(SOFTWAREUPDATECLIENT_BUILD_TOOLS OR SOFTWAREUPDATECLIENT_BUILD_TESTS
   OR SOFTWAREUPDATECLIENT_BUILD_EXAMPLES)
  pkg_check_modules(httplib REQUIRED IMPORTED_TARGET cpp-httplib)
endif()
if(SOFTWAREUPDATECLIENT_BUILD_BENCHMARKS)
  find_package(benchmark REQUIRED)
endif()
