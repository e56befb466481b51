// SPDX-License-Identifier: MIT
// Numbers that people type, read to the letter.
#include "host/base/number_text.h"

#include "common/number_text.h"

namespace dx4::host {

// A digit of another script is several bytes of UTF-8, and none of them a digit.

std::optional<int> parseWholeNumber(const QString &text)
{
    return common::parseWholeNumber(text.toStdString());
}

std::optional<quint16> parseRegisterValue(const QString &text)
{
    return common::parseRegisterValue(text.toStdString());
}

std::optional<double> parseDecimal(const QString &text)
{
    return common::parseDecimal(text.toStdString());
}

} // namespace dx4::host
