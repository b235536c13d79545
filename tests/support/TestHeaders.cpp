// The object of the tests' precompiled header.
