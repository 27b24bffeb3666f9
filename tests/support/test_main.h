#pragma once

#include <QtTest/QtTest>

/// What every test program does before its first test.
namespace test_support
{

/// Gives the process fresh directories of its own (HOME, XDG_*, QPEDIR below a temporary directory that goes with the
/// process). Call it before the application object is made. A message of level "critical" fails the run (ctest looks
/// for it).
void prepare_process();

/// Empties the directory QPEDIR and the configuration directory, for a test that wants a device fresh from the box.
void reset_directories();

/// A time that a test gives something to happen, or a limit to how long it may take: longer where everything takes
/// longer, under a sanitizer or on an emulated processor. The QTRY_ macros stretch their times themselves.
constexpr int stretched(int milliseconds)
{
    return milliseconds * TAVEL_WAIT_FACTOR;
}

} // namespace test_support

/// The main function of a test program: an application of class @p Application, then all tests of @p TestClass.
#define TAVEL_TEST_MAIN_WITH(Application, TestClass)                                                                   \
    int main(int argc, char** argv)                                                                                    \
    {                                                                                                                  \
        test_support::prepare_process();                                                                               \
        Application application(argc, argv);                                                                           \
        TestClass test;                                                                                                \
        return QTest::qExec(&test, argc, argv);                                                                        \
    }

#define TAVEL_TEST_MAIN(TestClass) TAVEL_TEST_MAIN_WITH(QApplication, TestClass)
