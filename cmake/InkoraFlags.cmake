# What every target of this project is compiled with.
add_library(InkoraFlags INTERFACE)
target_compile_features(InkoraFlags INTERFACE cxx_std_20)
target_compile_options(InkoraFlags INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow $<$<BOOL:${INKORA_WERROR}>:-Werror>)
if(INKORA_SANITIZE)
    target_compile_options(InkoraFlags INTERFACE
        -fsanitize=${INKORA_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    # A host in C needs what the library needs of them, which is C++.
    target_link_options(InkoraFlags INTERFACE -fsanitize=${INKORA_SANITIZE}
        $<$<LINK_LANG_AND_ID:C,Clang>:-fsanitize-link-c++-runtime>)
    target_link_libraries(InkoraFlags INTERFACE $<$<LINK_LANG_AND_ID:C,Clang>:stdc++>)
endif()
if(INKORA_FUZZERS)
    target_compile_options(InkoraFlags INTERFACE -fsanitize=fuzzer-no-link)
endif()
