// Passes replies of any length and content, in every state of a request.
#include "fuzz/common.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    Input input(bytes, size);
    while (input.isLeft()) {
        const int step = input.below(12);
        if (step == 0) {
            const QList<VAR_ITEM> items = input.items();
            ReCreatReadVarList(&items);
        } else if (step == 1) {
            EnCommStation(input.number(0, 3), input.below(3));
        } else if (step == 2) {
            input.setComInfo();
        } else if (step < 6) {
            queue(input);
        } else {
            exchange(input);
        }
    }
    return 0;
}
