// SPDX-License-Identifier: MIT
// A file descriptor that is closed at its owner's end.
#pragma once

namespace dx4::host {

class OwnDescriptor {
public:
    /// Throws std::system_error where the system gave none.
    ///
    /// @param number  as a call gave it that opens one
    /// @param from    name of that call
    OwnDescriptor(int number, const char *from);
    ~OwnDescriptor();
    OwnDescriptor(const OwnDescriptor &) = delete;
    OwnDescriptor &operator=(const OwnDescriptor &) = delete;

    int number() const { return m_number; }

private:
    const int m_number;
};

} // namespace dx4::host
