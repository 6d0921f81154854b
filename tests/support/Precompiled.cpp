// Owner of the precompiled header of the tests.
