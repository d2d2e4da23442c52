#pragma once

#include <QObject>

namespace vx::test {

/**
 * Runs @p testObject as a Qt Test program in surroundings of its own.
 *
 * Home, configuration, cache and temporary folders are private to the run and removed at its end,
 * so that no test reads or leaves anything in the user's own folders. The platform is "offscreen"
 * unless QT_QPA_PLATFORM says otherwise.
 *
 * @return the exit code of the program.
 */
int runTest(int argc, char** argv, QObject* (*createTest)());

} // namespace vx::test

/** Defines main() for the test class @p TestClass. */
#define VX_TEST_MAIN(TestClass)                                                                    \
    int main(int argc, char** argv)                                                                \
    {                                                                                              \
        return vx::test::runTest(argc, argv, []() -> QObject* { return new TestClass; });          \
    }
