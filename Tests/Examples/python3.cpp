// Python with whatever this is built with.
extern "C" int Py_BytesMain(int argc, char** argv);

int main(int argc, char** argv) { return Py_BytesMain(argc, argv); }
