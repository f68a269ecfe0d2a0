#include <cstdio>

int main()
{
    std::fputs("usage: vmk COMMAND\n", stderr);
    return 2;
}
