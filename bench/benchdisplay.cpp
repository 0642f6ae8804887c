#include "bench/benchdisplay.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <unistd.h>
#include <vector>

void GoToDisplay()
{
    if (std::getenv("DISPLAY") != nullptr)
        return;
    std::ifstream file("/proc/self/cmdline", std::ios::binary);
    std::vector<std::string> words = {"xvfb-run", "-a", "-s", "-screen 0 1600x1200x24"};
    for (std::string word; std::getline(file, word, '\0');)
        words.push_back(word);
    std::vector<char*> arguments;
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    execvp(arguments[0], arguments.data());
    std::perror("xvfb-run");
}
