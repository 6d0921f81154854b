/* GPU_FONT::pGPU_FONT, straight from the unpacked atlas file. */
/* clang-format off */

#define SYMBOL _ZN8GPU_FONT9pGPU_FONTE

    .section .rodata, "a", %progbits
    .global SYMBOL
    .type SYMBOL, %object
    .size SYMBOL, 466944
    .balign 64
SYMBOL:
    .incbin GPU_FONT_FILE, 0, 466944

    .section .note.GNU-stack, "", %progbits
