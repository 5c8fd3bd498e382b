extern "C" {
int answer();
int asked();
}

int asked() {
    return answer() + 1;
}
