// SPDX-License-Identifier: GPL-3.0-or-later
// The C++ runtime that is linked into the library keeps memory in reserve for exceptions that are
// thrown when there is none, and has no end at which it gives that back: 73 kB each time a host
// loads the library and unloads it again. This is the call that leak checkers make.

namespace __gnu_cxx {  // NOLINT(bugprone-reserved-identifier): the runtime's own
void __freeres();      // NOLINT(bugprone-reserved-identifier)
}

namespace {

// The lowest number runs last of all that happens when the library goes.
[[gnu::destructor(101)]] void GiveReserveBack() { __gnu_cxx::__freeres(); }

}  // namespace
