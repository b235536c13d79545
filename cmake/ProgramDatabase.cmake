# bridge_program_database(TARGET): debug data in a PDB beside the program, which knows it by its name
# alone.
function(bridge_program_database target)
    if(NOT MSVC)  # which writes one by itself
        target_link_options(${target} PRIVATE
            "-Wl,--pdb=$<TARGET_FILE_DIR:${target}>/$<TARGET_FILE_BASE_NAME:${target}>.pdb"
            "-Wl,-Xlink=-pdbaltpath:$<TARGET_FILE_BASE_NAME:${target}>.pdb")
    endif()
endfunction()
