// What the thread sanitizer cannot know: the count of references to an exception
// is kept inside the C++ library, which is not instrumented. A thread that reads
// an exception and lets go of it, and another that then lets go last and frees
// it, look unordered although the count orders them.

extern "C" const char* __tsan_default_suppressions();

extern "C" const char* __tsan_default_suppressions() {
    return "race:std::__exception_ptr::exception_ptr::_M_release\n";
}
