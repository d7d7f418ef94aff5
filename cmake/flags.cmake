# Warnings and hardening in one place, for all three compilers in use.

add_library(trk_warnings INTERFACE)
target_compile_options(trk_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Werror -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast
  -Wcast-qual -Wformat=2 -Wundef -Wnull-dereference -Wduplicated-cond -Wlogical-op
  -Wno-missing-field-initializers)

# What src/ is compiled with on every platform: no exceptions, no run-time types.
add_library(trk_source_flags INTERFACE)
target_link_libraries(trk_source_flags INTERFACE trk_warnings)
target_compile_features(trk_source_flags INTERFACE cxx_std_20)
target_compile_options(trk_source_flags INTERFACE -fno-exceptions -fno-rtti)
target_compile_definitions(trk_source_flags INTERFACE UNICODE _UNICODE)
target_include_directories(trk_source_flags INTERFACE ${PROJECT_SOURCE_DIR}/src)

if(WIN32)
  # Vista is the oldest system that the manifest names; what is newer is looked up at run time.
  target_compile_definitions(trk_source_flags INTERFACE _WIN32_WINNT=0x0600 WINVER=0x0600 NTDDI_VERSION=0x06000000)
  # The functions' own sections let the linker drop what nothing calls. Casts between function pointer types
  # are what run-time look-up is made of.
  target_compile_options(trk_source_flags INTERFACE
    -Os -ffunction-sections -fdata-sections -fno-ident -fno-asynchronous-unwind-tables
    -Wno-cast-function-type -ffile-prefix-map=${PROJECT_SOURCE_DIR}=.)
else()
  # The layer ends a run by unwinding through the program's frames, so they need unwind tables.
  target_compile_options(trk_source_flags INTERFACE -fasynchronous-unwind-tables -Wno-cast-function-type)
  target_include_directories(trk_source_flags SYSTEM INTERFACE ${PROJECT_SOURCE_DIR}/platform/include)
endif()

option(TRK_ASAN "AddressSanitizer and UndefinedBehaviorSanitizer" OFF)
option(TRK_TSAN "ThreadSanitizer" OFF)
if(TRK_ASAN)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
elseif(TRK_TSAN)
  add_compile_options(-fsanitize=thread -fno-omit-frame-pointer)
  add_link_options(-fsanitize=thread)
endif()
