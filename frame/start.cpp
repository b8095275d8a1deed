// The loader's two calls. There is nothing to set up and nothing to take down.
#pragma GCC visibility push(hidden)
extern "C" {
int _init() { return 1; }
void _fini() {}
}
#pragma GCC visibility pop
