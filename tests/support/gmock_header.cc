// A program of nothing: its precompiled header is what the test programs use.
int main() {}
