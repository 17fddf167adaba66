/* What Visual Studio's own start-up code does, for a program that is linked without it. */
int _fltused = 1;

__declspec(dllimport) void __stdcall ExitProcess(unsigned int code);
void __cdecl __getmainargs(int* argc, char*** argv, char*** environment, int expand, int* mode);
int main(int argc, char** argv);

void start(void) {
    int argc, mode = 0;
    char **argv, **environment;
    __getmainargs(&argc, &argv, &environment, 0, &mode);
    ExitProcess((unsigned int)main(argc, argv));
}
