# Options every target is compiled with.
#
# Floating point must not be contracted: meshes and matrices are the same on every processor.
add_compile_options(-ffp-contract=off)
add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wshadow)
if(LUMOR_WARNINGS_AS_ERRORS)
    add_compile_options(-Werror)
endif()
if(LUMOR_SANITIZE)
    add_compile_options(-fsanitize=${LUMOR_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${LUMOR_SANITIZE})
endif()
