# What keeps a fault in memory from becoming somebody else's code, in everything that is built.
include(CheckCXXCompilerFlag)
include(CheckPIESupported)

# Executables are at addresses that nobody knows, as the library is.
check_pie_supported(LANGUAGES CXX)

# Each where the compiler has it for the processor; the last two are the same thing on two kinds of processor.
set(CMAKE_REQUIRED_FLAGS -Werror)
foreach(flag -fstack-protector-strong -fstack-clash-protection -fcf-protection=full -mbranch-protection=standard)
  string(MAKE_C_IDENTIFIER VIG_HAS${flag} has)
  check_cxx_compiler_flag(${flag} ${has})
  if(${has})
    add_compile_options(${flag})
  endif()
endforeach()
unset(CMAKE_REQUIRED_FLAGS)

# Only an optimised build, also one whose type says nothing of it, has what it checks with, and the sanitizers check the
# same themselves.
string(TOUPPER "CMAKE_CXX_FLAGS_${CMAKE_BUILD_TYPE}" type_flags)
set(flags " ${CMAKE_CXX_FLAGS} ${${type_flags}}")
if(flags MATCHES " -O[1-9gsz]" AND NOT flags MATCHES "-fsanitize")
  add_compile_options(-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3)
  if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    set(VIG_FORTIFIED --fortified)
  endif()
endif()

add_link_options(-Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
if(VIG_HAS_fcf_protection_full)
  # The system's start-up code is not marked, which would take the mark from the whole file. It returns to where it
  # was called from, as the shadow stack asks; but it does not begin with the instruction that the other half of the
  # protection, of indirect calls, asks for, so that mark is left out.
  add_link_options(-Wl,-z,shstk)
endif()
# On arm64 the protection of returns needs no mark. That of indirect calls does, and the linker gives it where the start-up
# code has it too. It is not forced: a file that is marked all the same is killed, before its first line, by a processor
# that checks.
