// SPDX-License-Identifier: MIT
// The two bytes of the host's block that ask for a recipe transfer.
#include "korvane_dx4/recipe_request.h"

#include "korvane_dx4.h"
#include "result_codes.h"

#include <QMutexLocker>

namespace dx4 {
namespace {

constexpr unsigned char requested = 1;

bool hostIsComplete()
{
    return driver.hostBlock && driver.hostMutex;
}

} // namespace

RecipeRequest requestedRecipe()
{
    if (!hostIsComplete())
        return RecipeRequest::None;
    const QMutexLocker lock(driver.hostMutex);
    if (driver.hostBlock[recipeWriteFlag] == requested)
        return RecipeRequest::Write;
    if (driver.hostBlock[recipeReadFlag] == requested)
        return RecipeRequest::Read;
    return RecipeRequest::None;
}

void clearRecipeRequest(int flagPosition)
{
    if (!hostIsComplete())
        return;
    const QMutexLocker lock(driver.hostMutex);
    driver.hostBlock[flagPosition] = 0;
}

} // namespace dx4
