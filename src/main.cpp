#include "ui/MarluneApp.h"

int main(int argc, char **argv)
{
    return MarluneApp::run(argc, argv);
}
