/// The only export of a library that has the name of the engine's client library, but none of its functions.
extern "C" __declspec(dllexport) int Nothing() { return 0; }
