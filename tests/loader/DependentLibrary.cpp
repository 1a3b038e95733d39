// A library for the loader's tests that calls into its neighbour.
extern "C" int plainAnswer();
extern "C" int dependentAnswer();

extern "C" int dependentAnswer() {
    return plainAnswer() + 1;
}
