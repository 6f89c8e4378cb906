/* The load configuration and Control Flow Guard check pointers of a binary built with
 * Clang's -mguard=cf, which the MinGW-w64 10 runtime does not supply (Hardening.cmake).
 *
 * The instrumented code makes each indirect call through __guard_dispatch_icall_fptr (or
 * checks the target through __guard_check_icall_fptr). Both point at pass-through routines
 * here; a Windows loader that enforces Control Flow Guard finds them through the load
 * configuration and replaces them with its own check against the table of valid targets,
 * which LLD writes (__guard_fids_table). A loader that does not enforce it, Wine's among
 * them, leaves them as they are and every call goes straight through.
 *
 * Written in assembly: the load configuration's GuardFlags is a 32-bit field filled from an
 * absolute symbol of the linker, which C cannot express as a constant, and the dispatch
 * routine must jump to the target in RAX without touching the argument registers. */
__asm__(".text\n"
        ".p2align 4\n"
        "lumaven_guard_check_icall_nop:\n"
        "    ret\n"
        ".p2align 4\n"
        "lumaven_guard_dispatch_icall_nop:\n"
        "    jmp *%rax\n"
        /* Read-only once loaded, so that no write can redirect them: .00cfg, which LLD
         * merges into .rdata, as Windows' own runtimes do. */
        ".section .00cfg,\"dr\"\n"
        ".globl __guard_check_icall_fptr\n"
        ".p2align 3\n"
        "__guard_check_icall_fptr:\n"
        "    .quad lumaven_guard_check_icall_nop\n"
        ".globl __guard_dispatch_icall_fptr\n"
        "__guard_dispatch_icall_fptr:\n"
        "    .quad lumaven_guard_dispatch_icall_nop\n"
        /* IMAGE_LOAD_CONFIG_DIRECTORY64 up to the long-jump target table (192 bytes):
         * Size, 108 bytes of fields left 0, then the guard fields from offset 112. */
        ".section .rdata,\"dr\"\n"
        ".globl _load_config_used\n"
        ".p2align 3\n"
        "_load_config_used:\n"
        "    .long 192\n"
        "    .fill 108, 1, 0\n"
        "    .quad __guard_check_icall_fptr\n"
        "    .quad __guard_dispatch_icall_fptr\n"
        "    .quad __guard_fids_table\n"
        "    .quad __guard_fids_count\n"
        "    .long __guard_flags\n"
        "    .fill 12, 1, 0\n"
        "    .quad __guard_iat_table\n"
        "    .quad __guard_iat_count\n"
        "    .quad __guard_longjmp_table\n"
        "    .quad __guard_longjmp_count\n");
