// console_shot FILE TEXT PROGRAM ARGUMENT...: runs a program in a console until its screen shows
// TEXT, presses Ctrl+C and writes the screen to FILE.
#include <fstream>
#include <ios>
#include <string>
#include <vector>

#include "PseudoConsole.h"

int main(int count, char** arguments) {
    if (count < 4) return 2;
    PseudoConsole console(65001);
    console.start(arguments[3], {arguments + 4, arguments + count});
    const bool isShown = console.screenWith(arguments[2]).find(arguments[2]) != std::string::npos;
    console.pressCtrlC();
    const bool hasEnded = console.finish() == 0;
    std::ofstream(arguments[1], std::ios::binary) << console.screen();
    return isShown && hasEnded ? 0 : 1;
}
