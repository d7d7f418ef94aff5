# Warnings and hardening in one place, for all three compilers in use.

add_library(trk_warnings INTERFACE)
target_compile_options(trk_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Werror -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast
  -Wcast-qual -Wformat=2 -Wundef -Wduplicated-cond -Wlogical-op
  -Wno-missing-field-initializers
  # Not for targets in whose standard library code the compiler sees null pointers that aren't there.
  $<$<NOT:$<BOOL:$<TARGET_PROPERTY:TRK_SEES_NULL>>>:-Wnull-dereference>)

# What src/ is compiled with on every platform, and who includes its headers. What is left out of the language stands
# with the targets of src/ alone, since tools and tests that link them do use it.
add_library(trk_source_flags INTERFACE)
target_link_libraries(trk_source_flags INTERFACE trk_warnings)
target_compile_features(trk_source_flags INTERFACE cxx_std_20)
set(TRK_SOURCE_LANGUAGE -fno-exceptions -fno-rtti)
target_compile_definitions(trk_source_flags INTERFACE UNICODE _UNICODE)
target_include_directories(trk_source_flags INTERFACE ${PROJECT_SOURCE_DIR}/src)

# Recompilation after a switch of branches is cheap where the compiler cache is installed.
find_program(TRK_CCACHE ccache)
if(TRK_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${TRK_CCACHE})
endif()

if(WIN32)
  target_include_directories(trk_source_flags INTERFACE ${PROJECT_SOURCE_DIR}/windows/include)
  # Vista is the oldest system that the manifest names; what is newer is looked up at run time.
  target_compile_definitions(trk_source_flags INTERFACE _WIN32_WINNT=0x0600 WINVER=0x0600 NTDDI_VERSION=0x06000000)
  # The functions' own sections let the linker drop what nothing calls. Casts between function pointer types
  # are what run-time look-up is made of.
  target_compile_options(trk_source_flags INTERFACE
    -Os -ffunction-sections -fno-ident -fstack-protector-strong -Wno-cast-function-type
    -ffile-prefix-map=${PROJECT_SOURCE_DIR}=. -ffile-prefix-map=${CMAKE_BINARY_DIR}=build)
  if(CMAKE_SIZEOF_VOID_P EQUAL 4)
    # On 64 bits the platform unwinds by these tables; on 32 bits nobody reads them.
    target_compile_options(trk_source_flags INTERFACE -fno-asynchronous-unwind-tables)
  endif()
  # Libraries that are loaded at their first use are called through their stubs. Where a header says dllimport the
  # 32-bit linker would drop the stub and leave the slot that it fills empty, so the headers' own switches
  # take that away.
  target_compile_definitions(trk_source_flags INTERFACE
    _SHELL32_ _SHLWAPI_ _OLE32_ _SETUPAPI_ _CFGMGR32_ WINSOCK_API_LINKAGE=)

  # The system libraries that are loaded with the program, in place of the longer list that CMake links by itself.
  set(CMAKE_CXX_STANDARD_LIBRARIES "-ladvapi32 -lgdi32 -luser32 -lkernel32")

  # The programs take from the library only what they call: the linker compiles the whole anew. The library's own
  # objects serve other linkers too.
  list(APPEND TRK_SOURCE_LANGUAGE -flto -ffat-lto-objects)
  set(whole_program -flto -Os -fstack-protector-strong)

  # A late import that only dropped routines call keeps its slot, and the slot needs the code that it starts with. The
  # linker's own script sees to that on 32 bits alone, so its list of slots becomes one to keep on 64 bits too.
  set(linker_script ${PROJECT_BINARY_DIR}/linker_script.ld)
  execute_process(COMMAND ${CMAKE_LINKER} --verbose OUTPUT_VARIABLE script COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX REPLACE "^.*==========\n(.*)\n==========.*$" "\\1" script "${script}")
  string(REGEX REPLACE "\n *(SORT\\(\\*\\)\\(\\.idata\\$5\\))" "\n    KEEP (\\1)" script "${script}")
  file(CONFIGURE OUTPUT ${linker_script} CONTENT "${script}" @ONLY)

  # No runtime library of the compiler and no start-up of its, an image that may lie anywhere and whose data can't be
  # run, and nothing in it that differs from one build to the next.
  add_library(trk_windows_link INTERFACE)
  target_link_options(trk_windows_link INTERFACE
    ${whole_program} -nostartfiles -static -Wl,--gc-sections -Wl,--default-script,${linker_script}
    -Wl,--disable-auto-import -Wl,--dynamicbase -Wl,--nxcompat -Wl,--enable-reloc-section
    -Wl,--no-insert-timestamp -Wl,--strip-debug -Wl,--fatal-warnings
    -Wl,--major-subsystem-version=6 -Wl,--minor-subsystem-version=0
    -Wl,--major-os-version=6 -Wl,--minor-os-version=0)
  if(CMAKE_SIZEOF_VOID_P EQUAL 8)
    target_link_options(trk_windows_link INTERFACE -Wl,--high-entropy-va)
  endif()
else()
  # The layer ends a run by unwinding through the program's frames, so they need unwind tables.
  target_compile_options(trk_source_flags INTERFACE -fasynchronous-unwind-tables -Wno-cast-function-type)
  target_include_directories(trk_source_flags SYSTEM INTERFACE ${PROJECT_SOURCE_DIR}/platform/include)
endif()

# Linux's presets take -Og: under the sanitizers it costs a compiler two thirds of what -O1 does, without them of what
# -O2 does. -O0 saves no more, since the assembler reads twice as much.

# On Linux most of a compiler's time goes into the standard library's headers and templates, so that several sources
# in one unit take less than half of it; precompiled headers were tried and saved nothing. src/ includes nearly
# nothing of the kind and is always compiled file by file, as it is for Windows.
option(TRK_UNITY "compile several sources of the layer, the tool and the tests at once" OFF)
if(TRK_UNITY AND NOT WIN32)
  set(CMAKE_UNITY_BUILD ON)
  set(CMAKE_UNITY_BUILD_BATCH_SIZE 25)
  # A source's own unnamed namespace is no other's, though the compiler sees it in an included file.
  add_compile_options(-Wno-subobject-linkage)
endif()

option(TRK_ASAN "AddressSanitizer and UndefinedBehaviorSanitizer" OFF)
option(TRK_TSAN "ThreadSanitizer" OFF)
option(TRK_FUZZ "libFuzzer with AddressSanitizer and UndefinedBehaviorSanitizer, by clang" OFF)
if(TRK_ASAN)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
elseif(TRK_FUZZ)
  # The warnings are for the compiler that the programs are made with; this one knows others.
  add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer -w)
  add_link_options(-fsanitize=address,undefined)
elseif(TRK_TSAN)
  # With its instrumentation the compiler sees null pointers in the standard library's own headers.
  add_compile_options(-fsanitize=thread -fno-omit-frame-pointer -Wno-error=null-dereference)
  add_link_options(-fsanitize=thread)
endif()
