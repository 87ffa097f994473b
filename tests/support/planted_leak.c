/* Leaks a block on purpose: the sanitizer build's suite shows that leak
 * checking works inside the emulated device. */
#include <stdlib.h>

static void *volatile block;

int main(void)
{
    block = malloc(33);
    block = NULL;
    return 0;
}
