# The public headers of the libraries, as they are written in an #include line.

include_guard(GLOBAL)

# zr_public_headers(OUT): every public header relative to its include folder, and OUT_GENERATED: those of them
# that the build writes into ${PROJECT_BINARY_DIR}/generated.
function(zr_public_headers out)
    file(GLOB written CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR}
        ${PROJECT_SOURCE_DIR}/ZrDebugLog/*.h ${PROJECT_SOURCE_DIR}/ZrUtil/*.h)
    file(GLOB_RECURSE kit CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/ZrKit/*.h)
    file(GLOB_RECURSE generated RELATIVE ${PROJECT_BINARY_DIR}/generated ${PROJECT_BINARY_DIR}/generated/*.h)
    set(${out} ${written} ${kit} ${generated} PARENT_SCOPE)
    set(${out}_GENERATED ${generated} PARENT_SCOPE)
endfunction()
