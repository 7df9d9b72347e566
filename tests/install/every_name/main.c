/* Loads the library by name and asks for every function named on the command line behind it. */
#include <dlfcn.h>
#include <stdio.h>

int main(int argc, char** argv) {
    void* library = argc > 1 ? dlopen(argv[1], RTLD_NOW) : NULL;
    int missing = 0;
    if (library == NULL) {
        printf("%s\n", argc > 1 ? dlerror() : "no library named");
        return 1;
    }
    for (int i = 2; i < argc; ++i)
        if (dlsym(library, argv[i]) == NULL) {
            printf("%s is missing\n", argv[i]);
            missing = 1;
        }
    printf("%d names\n", argc - 2);
    return missing;
}
