// What every guide program shares: Show prints what a step gives and counts each answer that
// is not the one the guide promises; the program exits with 1 when any was wrong, so a change
// of behaviour fails the package check instead of leaving the guide behind.
#ifndef KAVO_EXAMPLES_GUIDE_SHOW_H
#define KAVO_EXAMPLES_GUIDE_SHOW_H

#include <iostream>
#include <sstream>
#include <string>

namespace Guide {

inline int& Wrong()
{
    static int count = 0;
    return count;
}

// Prints "label: value"; a value other than `expected` is also reported on standard error.
template <typename T>
void Show(const std::string& label, const T& value, const T& expected)
{
    std::ostringstream text;
    text << std::boolalpha << value;
    std::cout << label << ": " << text.str() << "\n";
    if (!(value == expected)) {
        std::ostringstream want;
        want << std::boolalpha << expected;
        std::cerr << "wrong: " << label << " is " << text.str() << ", the guide says " << want.str() << "\n";
        ++Wrong();
    }
}

inline void Show(const std::string& label, const std::string& value, const char* expected)
{
    Show(label, value, std::string(expected));
}

inline int ExitStatus()
{
    return Wrong() == 0 ? 0 : 1;
}

}  // namespace Guide

#endif  // KAVO_EXAMPLES_GUIDE_SHOW_H
