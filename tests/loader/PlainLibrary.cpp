// A library for the loader's tests.
extern "C" int plainAnswer();

extern "C" int plainAnswer() {
    return 42;
}
