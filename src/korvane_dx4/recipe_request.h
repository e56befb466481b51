// SPDX-License-Identifier: MIT
// The two bytes of the host's block that ask for a recipe transfer.
#pragma once

namespace dx4 {

/// What the host asks for; writing comes first when both bytes are 1.
enum class RecipeRequest { None, Write, Read };

/// Looks at the two bytes under the host's mutex. None without block or mutex.
RecipeRequest requestedRecipe();

/// Sets the byte at `flagPosition` to 0 under the host's mutex; nothing without block or mutex.
void clearRecipeRequest(int flagPosition);

} // namespace dx4
