# bridge_program_database(TARGET): writes debug data to a PDB next to the program. The program contains
# the name of the PDB without a folder.
function(bridge_program_database target)
    if(NOT MSVC)  # MSVC does so by default
        target_link_options(${target} PRIVATE
            "-Wl,--pdb=$<TARGET_FILE_DIR:${target}>/$<TARGET_FILE_BASE_NAME:${target}>.pdb"
            "-Wl,-Xlink=-pdbaltpath:$<TARGET_FILE_BASE_NAME:${target}>.pdb")
    endif()
endfunction()
