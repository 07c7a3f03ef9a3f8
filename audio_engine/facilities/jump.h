#pragma once

// engine_jump NAME, VISIBILITY, INDEX: a function that is nothing but a jump to where
// targets[INDEX] points, so that it serves every signature, arguments without number included.

#if defined(__x86_64__)
__asm__(R"(
.macro engine_jump_to index
  endbr64
  jmp *targets+8*\index(%rip)
.endm
)");
#elif defined(__aarch64__)
__asm__(R"(
.macro engine_jump_to index
  hint #34
  adrp x16, targets+8*\index
  ldr x16, [x16, #:lo12:targets+8*\index]
  br x16
.endm
)");
#else
#error "the jump to an engine's function is not written for this processor"
#endif

__asm__(R"(
.macro engine_jump name, visibility, index
  .text
  .p2align 4
  .globl \name
  .\visibility \name
  .type \name, %function
\name:
  .cfi_startproc
  engine_jump_to \index
  .cfi_endproc
  .size \name, . - \name
.endm
)");
