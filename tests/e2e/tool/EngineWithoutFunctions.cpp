/// The only export of a library that passes for the engine's, but for its functions.
extern "C" __declspec(dllexport) int Nothing() { return 0; }
