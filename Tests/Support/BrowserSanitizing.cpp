#if defined(__SANITIZE_ADDRESS__)

// Qt's browser deletes objects of its own under a smaller type's size, which ends every test with a page in it. Sizes
// are left unchecked in the programs that hold one; what else is asked of the sanitizer stays. The sanitizer's
// library finds the function by its name, which a program with hidden symbols would keep to itself.
extern "C" __attribute__((visibility("default"))) const char* __asan_default_options();
extern "C" const char* __asan_default_options()
{
    return "new_delete_type_mismatch=0";
}

#endif
