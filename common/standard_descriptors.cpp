// SPDX-License-Identifier: MIT
// Standard streams that the caller has closed.
#include "common/standard_descriptors.h"

#include <fcntl.h>
#include <unistd.h>

#include <initializer_list>

namespace dx4::common {

void holdStandardStreams()
{
    // open() gives the lowest free number. What is written there is refused, which is noticed.
    for (const int stream : { STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO }) {
        if (fcntl(stream, F_GETFD) < 0)
            open("/dev/null", O_RDONLY);
    }
}

} // namespace dx4::common
