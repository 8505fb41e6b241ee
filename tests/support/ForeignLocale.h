// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <clocale>
#include <locale>
#include <string>

/// Puts the process under the rules of a country that writes numbers with a decimal comma and
/// groups of thousands, and back on destruction. The C library follows where the machine has such a
/// locale.
class ForeignLocale {
public:
    ForeignLocale() : cLocale_(std::setlocale(LC_ALL, nullptr)) {
        previous_ = std::locale::global(std::locale(std::locale::classic(), new CommaFacet));
        for (const char* name : {"tr_TR.UTF-8", "de_DE.UTF-8", "German_Germany.1252"}) {
            if (std::setlocale(LC_ALL, name) != nullptr) break;
        }
    }
    ~ForeignLocale() {
        std::locale::global(previous_);
        std::setlocale(LC_ALL, cLocale_.c_str());
    }
    ForeignLocale(const ForeignLocale&) = delete;
    ForeignLocale& operator=(const ForeignLocale&) = delete;

private:
    struct CommaFacet : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }  // NOLINT(*-naming): the library's
        char do_thousands_sep() const override { return '.'; }  // NOLINT(*-naming)
        std::string do_grouping() const override { return "\3"; }  // NOLINT(*-naming)
    };

    std::locale previous_;
    std::string cLocale_;
};
