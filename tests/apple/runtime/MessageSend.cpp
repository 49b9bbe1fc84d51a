// Sending a message: the arguments are kept while the method is looked up, and then the method is jumped to, so that it
// sees the caller's frame. A message to nil answers with zeros.
__asm__(R"(
.macro keep_arguments
    push %rbp
    mov %rsp, %rbp
    sub $192, %rsp
    mov %rdi, (%rsp)
    mov %rsi, 8(%rsp)
    mov %rdx, 16(%rsp)
    mov %rcx, 24(%rsp)
    mov %r8, 32(%rsp)
    mov %r9, 40(%rsp)
    mov %rax, 48(%rsp)
    movaps %xmm0, 64(%rsp)
    movaps %xmm1, 80(%rsp)
    movaps %xmm2, 96(%rsp)
    movaps %xmm3, 112(%rsp)
    movaps %xmm4, 128(%rsp)
    movaps %xmm5, 144(%rsp)
    movaps %xmm6, 160(%rsp)
    movaps %xmm7, 176(%rsp)
.endm
.macro restore_arguments
    mov %rax, %r11
    mov (%rsp), %rdi
    mov 8(%rsp), %rsi
    mov 16(%rsp), %rdx
    mov 24(%rsp), %rcx
    mov 32(%rsp), %r8
    mov 40(%rsp), %r9
    mov 48(%rsp), %rax
    movaps 64(%rsp), %xmm0
    movaps 80(%rsp), %xmm1
    movaps 96(%rsp), %xmm2
    movaps 112(%rsp), %xmm3
    movaps 128(%rsp), %xmm4
    movaps 144(%rsp), %xmm5
    movaps 160(%rsp), %xmm6
    movaps 176(%rsp), %xmm7
    leave
.endm
.macro begin_function name
    .globl \name
    .type \name, @function
    .p2align 4
\name:
.endm

.text
begin_function objc_msgSend
    test %rdi, %rdi
    je 1f
    keep_arguments
    call vantryLookUp
    restore_arguments
    jmp *%r11
1:  xor %eax, %eax
    xor %edx, %edx
    xorps %xmm0, %xmm0
    xorps %xmm1, %xmm1
    ret

begin_function objc_msgSend_stret
    test %rsi, %rsi
    je 1f
    keep_arguments
    mov %rsi, %rdi
    mov %rdx, %rsi
    call vantryLookUp
    restore_arguments
    jmp *%r11
1:  mov %rdi, %rax
    ret

begin_function objc_msgSendSuper2
    keep_arguments
    call vantryLookUpSuper
    restore_arguments
    mov (%rdi), %rdi
    jmp *%r11

begin_function objc_msgSendSuper2_stret
    keep_arguments
    mov %rsi, %rdi
    mov %rdx, %rsi
    call vantryLookUpSuper
    restore_arguments
    mov (%rsi), %rsi
    jmp *%r11

begin_function __objc_personality_v0
    jmp __gxx_personality_v0
)");
