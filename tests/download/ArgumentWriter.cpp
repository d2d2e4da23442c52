// Stands for a program that is started: writes its arguments, each ended by a null character, to
// the file that VX_ARGUMENTS_FILE names.

#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv)
{
    const char* path = std::getenv("VX_ARGUMENTS_FILE");
    std::FILE* file = path != nullptr ? std::fopen(path, "wb") : nullptr;
    if (file == nullptr) {
        return 1;
    }
    for (int i = 0; i < argc; ++i) {
        std::fputs(argv[i], file);
        std::fputc('\0', file);
    }
    return std::fclose(file) == 0 ? 0 : 1;
}
