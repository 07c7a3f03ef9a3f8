// A program of nothing: its precompiled header is what the tests of the host use.
int main() {}
