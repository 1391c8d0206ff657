# What every target of this project is compiled with.
add_library(InkoraFlags INTERFACE)
target_compile_features(InkoraFlags INTERFACE cxx_std_20)
target_compile_options(InkoraFlags INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow $<$<BOOL:${INKORA_WERROR}>:-Werror>)
if(INKORA_SANITIZE)
    target_compile_options(InkoraFlags INTERFACE
        -fsanitize=${INKORA_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(InkoraFlags INTERFACE -fsanitize=${INKORA_SANITIZE})
endif()
if(INKORA_FUZZERS)
    target_compile_options(InkoraFlags INTERFACE -fsanitize=fuzzer-no-link)
endif()
