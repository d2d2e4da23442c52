// Stands for the update helper: writes its process id and its arguments, each ended by a zero, to
// the file that ARGUMENTS_FILE names.

#include <cstdio>
#include <cstdlib>

#include <unistd.h>

int main(int argc, char** argv)
{
    std::FILE* file = std::fopen(std::getenv("ARGUMENTS_FILE"), "wb");
    if (file == nullptr) {
        return 1;
    }
    std::fprintf(file, "%ld", static_cast<long>(getpid()));
    std::fputc(0, file);
    for (int i = 0; i < argc; ++i) {
        std::fputs(argv[i], file);
        std::fputc(0, file);
    }
    return std::fclose(file);
}
