#include <cstdlib>

#include "base/Worker.h"
#include "window/Startup.h"

int main(int argc, char** argv) {
    const int code = runTarnwick(argc, argv);
    if (Worker::isAnyLeft()) {
        std::_Exit(code);  // the reader may use what is destroyed from here on
    }
    return code;
}
