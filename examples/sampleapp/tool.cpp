// A program module: started by the loader in its own directory.
#include <cstdio>
#include <unistd.h>

int main(int argc, char** argv) {
    char dir[4096] = "?";
    if (!getcwd(dir, sizeof dir)) dir[0] = '?';
    std::printf("  [SampleTool] gestartet in %s mit %d Argument(en):", dir, argc - 1);
    for (int i = 1; i < argc; ++i) std::printf(" %s", argv[i]);
    std::printf("\n");
    return 0;
}
