# bridge_program_database(TARGET): debug data in a PDB beside the program.
function(bridge_program_database target)
    if(NOT MSVC)  # which writes one by itself
        target_link_options(${target} PRIVATE
            "-Wl,--pdb=$<TARGET_FILE_DIR:${target}>/$<TARGET_FILE_BASE_NAME:${target}>.pdb")
    endif()
endfunction()
