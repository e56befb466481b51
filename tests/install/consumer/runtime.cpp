// SPDX-License-Identifier: MIT
// The least that a runtime does: it loads the plug-in by its name and asks for the protocol.
#include <driver_api.h>

#include <cstdio>
#include <dlfcn.h>

int main(int argc, char **argv)
{
    void *const plugin = dlopen(argc > 1 ? argv[1] : PLUGIN, RTLD_NOW | RTLD_LOCAL);
    if (!plugin) {
        std::fprintf(stderr, "%s\n", dlerror());
        return 1;
    }
    const auto checkAddr =
        reinterpret_cast<decltype(&intf_checkAddr)>(dlsym(plugin, "intf_checkAddr"));
    int address = -1;
    const int code = checkAddr(QStringLiteral("F"), QStringLiteral("c.13"), &address, 0, 1, 1);
    std::printf("F c.13 is address %d, code %d\n", address, code);
    return address == 2573 ? 0 : 1;
}
