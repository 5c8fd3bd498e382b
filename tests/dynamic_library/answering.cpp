extern "C" int answer();

int answer() {
    return 42;
}
