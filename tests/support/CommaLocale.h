#pragma once

#include <gtest/gtest.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <locale>
#include <string>

#include "tests/support/TempFolder.h"

/// While it exists, the process's C functions and streams write and read numbers with a decimal comma. It creates its
/// own locale, so that none has to be installed. If that fails, the test fails.
class CCommaLocale {
 public:
    CCommaLocale() {
#if !defined(_WIN32)
        std::filesystem::create_directories(m_folder.Path("comma"));
        WriteAll(m_folder.Path("comma/LC_NUMERIC"), std::string(kNumeric, sizeof kNumeric));
        setenv("LOCPATH", m_folder.Path("").c_str(), 1);
        std::setlocale(LC_NUMERIC, "comma");
        unsetenv("LOCPATH");
#else
        std::setlocale(LC_NUMERIC, "German_Germany.1252");
#endif
        std::locale::global(std::locale(std::locale::classic(), new CCommaPunctuation));
        char text[8];
        std::snprintf(text, sizeof text, "%.1f", 0.5);
        EXPECT_STREQ(text, "0,5") << "the system doesn't accept the locale";
    }
    ~CCommaLocale() {
        std::locale::global(std::locale::classic());
        std::setlocale(LC_NUMERIC, "C");
    }
    CCommaLocale(const CCommaLocale&) = delete;
    CCommaLocale& operator=(const CCommaLocale&) = delete;

 private:
    struct CCommaPunctuation : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };

    /// A compiled LC_NUMERIC: mark, number of the entries, their offsets, then "," and "." and groups of three digits.
    static constexpr char kNumeric[] =
        "\x14\x11\x03\x20\6\0\0\0\x20\0\0\0\x22\0\0\0\x24\0\0\0\x28\0\0\0\x2C\0\0\0\x30\0\0\0"
        ",\0.\0\3\3\0\0,\0\0\0.\0\0\0ANSI_X3.4-1968";

    CTempFolder m_folder;
};
