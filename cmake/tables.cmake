# Turns the text tables of data/ into constant tables: the target `tables` brings the folder that holds them.
find_package(Python3 3.9 REQUIRED COMPONENTS Interpreter)

set(tables_dir ${CMAKE_CURRENT_BINARY_DIR}/generated)
set(tables_stamp ${tables_dir}/tables.stamp)
file(GLOB table_sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/data/*.tsv
     ${CMAKE_CURRENT_SOURCE_DIR}/data/*/*.tsv ${CMAKE_CURRENT_SOURCE_DIR}/data/*/*/*.tsv
     ${CMAKE_CURRENT_SOURCE_DIR}/tools/tablegen/*.py)

# Named, so that what includes a changed fragment is compiled in the same build.
set(tables_fragments analyzer_names analyzer_texts availability catalogued_formats corrected_fast_packet_ranges dd_class_0 dd_class_10000 dd_class_2436 df_conv_list
    df_conv_table dictionary_formats dictionary_table entry_sources enum_index enum_names enum_pairs enum_plans
    enum_sets enum_texts fast_packet_ranges field_extras field_note_index field_notes field_plans field_table
    format_class_table format_plans format_table listed_conditions listed_groups listed_messages listing_texts
    maker_rows measures parser_table parser_units pgn_plans pgn_rules pgn_table powers_double powers_single
    proprietary_ranges quantity_rows repeat_set_table si_units special_fields stream_key_table table_sizes text_pool
    text_sources unit_factors unit_format_table unit_names unit_rule_names unit_texts variant_lists variant_parts
    variants)
list(TRANSFORM tables_fragments REPLACE "(.+)" "${tables_dir}/\\1.inc")
list(APPEND tables_fragments ${tables_dir}/pgn_vistel/core/ids.h)

add_custom_command(
    OUTPUT ${tables_stamp}
    BYPRODUCTS ${tables_fragments}
    COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_SOURCE_DIR}/tools/tablegen/tablegen.py
            --data ${CMAKE_CURRENT_SOURCE_DIR}/data --out ${tables_dir}
    COMMAND ${CMAKE_COMMAND} -E touch ${tables_stamp}
    DEPENDS ${table_sources}
    COMMENT "Tables from data/"
    VERBATIM)
add_custom_target(generate_tables DEPENDS ${tables_stamp})

add_library(tables INTERFACE)
target_include_directories(tables INTERFACE ${tables_dir})
add_dependencies(tables generate_tables)
