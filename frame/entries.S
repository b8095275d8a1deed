/* The exported entries and their slots, both made from the one list of exports.
 *
 * An entry is a single indirect jump through its own slot, so that the public body finds the caller's frame exactly as
 * the caller left it. The slots lie in ordinary writable data and are filled by load-time relocations alone. */
#include <cet.h>

.macro ENTRY name
    .globl  \name
    .type   \name, @function
    .p2align 4
\name:
    _CET_ENDBR
    jmp     *.Lslot_\name(%rip)
    .size   \name, . - \name
.endm

.macro SLOT name
    .hidden n0_\name
.Lslot_\name:
    .quad   n0_\name
.endm

    .text
#define KPR_EXPORT(name) ENTRY name
#include "frame/exports.inc"
#undef KPR_EXPORT

    .data
    .globl  arraddr
    .hidden arraddr
    .type   arraddr, @object
    .p2align 3
arraddr:
#define KPR_EXPORT(name) SLOT name
#include "frame/exports.inc"
#undef KPR_EXPORT
    .size   arraddr, . - arraddr

    .section .note.GNU-stack, "", @progbits
