// Stands in for libFuzzer where the tests run, which may have another compiler: passes a fuzz
// target every seed as it is, and then a fixed number of seeds that are changed a little, the same
// ones each time. An input that fails is on its standard error as hexadecimal digits.
//
// Usage: PROGRAM NUMBER FOLDER      with the number of changed seeds and the folder of the seeds
#include <algorithm>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <unistd.h>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);
extern "C" __attribute__((weak)) int LLVMFuzzerInitialize(int* argc, char*** argv);
// There in a build with a sanitizer only.
extern "C" __attribute__((weak)) void __sanitizer_set_death_callback(void (*callback)());

namespace {

using Bytes = std::vector<uint8_t>;

Bytes current;

void showCurrent()
{
    constexpr char digits[] = "0123456789abcdef";
    for (const uint8_t byte : current) {
        const char pair[] = {digits[byte >> 4], digits[byte & 15]};
        if (::write(STDERR_FILENO, pair, sizeof(pair)) < 0) {
            return;
        }
    }
}

void showAndAbort(int signal)
{
    showCurrent();
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

void showWhatFails()
{
    std::signal(SIGABRT, showAndAbort);
    if (__sanitizer_set_death_callback != nullptr) {
        __sanitizer_set_death_callback(showCurrent);
    }
}

void run(const Bytes& input)
{
    current = input;
    LLVMFuzzerTestOneInput(current.data(), current.size());
}

Bytes contentOf(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/** In the order of their names: a folder lists its files in any order. */
std::vector<Bytes> seedsIn(const char* folder)
{
    std::vector<std::filesystem::path> paths;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        paths.push_back(entry.path());
    }
    std::sort(paths.begin(), paths.end());
    std::vector<Bytes> seeds;
    std::transform(paths.begin(), paths.end(), std::back_inserter(seeds), contentOf);
    return seeds;
}

class Mutator
{
public:
    /** Changes one to four places of @p input. */
    void change(Bytes& input)
    {
        for (size_t times = 1 + below(4); times > 0 && !input.empty(); --times) {
            changeOnce(input);
        }
    }

    size_t below(size_t bound) { return m_random() % bound; }

private:
    void changeOnce(Bytes& input)
    {
        const auto at = input.begin() + static_cast<std::ptrdiff_t>(below(input.size()));
        const auto length =
            std::min<std::ptrdiff_t>(static_cast<std::ptrdiff_t>(1 + below(64)), input.end() - at);
        switch (below(4)) {
        case 0:
            *at = static_cast<uint8_t>(*at ^ (1U << below(8)));
            break;
        case 1:
            *at = static_cast<uint8_t>(below(256));
            break;
        case 2:
            input.erase(at, at + length);
            break;
        default: {
            const Bytes copy(at, at + length);
            input.insert(input.begin() + static_cast<std::ptrdiff_t>(below(input.size())),
                         copy.begin(), copy.end());
        }
        }
    }

    std::mt19937 m_random;
};

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s NUMBER FOLDER\n", argv[0]);
        return 2;
    }
    if (LLVMFuzzerInitialize != nullptr) {
        LLVMFuzzerInitialize(&argc, &argv);
    }
    showWhatFails();
    const std::vector<Bytes> seeds = seedsIn(argv[2]);
    if (seeds.empty()) {
        std::fprintf(stderr, "%s: no seeds\n", argv[2]);
        return 1;
    }
    std::for_each(seeds.begin(), seeds.end(), run);
    Mutator mutator;
    for (int left = std::atoi(argv[1]); left > 0; --left) {
        Bytes input = seeds[mutator.below(seeds.size())];
        mutator.change(input);
        run(input);
    }
    return 0;
}
