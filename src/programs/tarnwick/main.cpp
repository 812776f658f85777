#include "window/Startup.h"

int main(int argc, char** argv) {
    return runTarnwick(argc, argv);
}
