// Compiles the test suites' shared precompiled header; see CMakeLists.txt.
