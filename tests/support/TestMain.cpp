// A Qt application object for tests that need an event loop, a D-Bus connection or standard folders.
#include <QCoreApplication>

#include <gtest/gtest.h>

#include <clocale>

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    std::setlocale(LC_NUMERIC, "C"); // as the program does, for libmpv
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
