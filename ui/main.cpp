#include "ui/desktop/Desktop.h"

int main(int argc, char** argv) {
    return tovi::runDesktop(argc, argv);
}
