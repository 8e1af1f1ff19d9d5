// A program module: started by the loader in its own directory.
#include <cstdio>
#include <filesystem>
#include <system_error>

int main(int argc, char** argv) {
    std::error_code ec;
    const std::string dir = std::filesystem::current_path(ec).string();
    std::printf("  [SampleTool] gestartet in %s mit %d Argument(en):", ec ? "?" : dir.c_str(), argc - 1);
    for (int i = 1; i < argc; ++i) std::printf(" %s", argv[i]);
    std::printf("\n");
    return 0;
}
