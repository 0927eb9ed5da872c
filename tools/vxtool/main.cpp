#include "vxtool/commands.h"

int main(int argc, char** argv)
{
    const std::vector<std::string> words(argv + (argc > 0 ? 1 : 0), argv + argc);
    return vxtool::Run(words);
}
