# The layers of src/, lowest first. Each subsystem names the layers it sits
# directly on; it may include and link those and everything below them, never
# a layer above or a neighbour beside it. The same table builds the libraries
# (CMakeLists.txt) and checks the includes (CheckLayers.cmake), so the two
# cannot drift apart.
#
#   store < app < reference, imports < invoicing < competitions, accounting, tools < shell
#
# reference and imports stand side by side, as do competitions, accounting and
# tools: a neighbour's rules are not theirs to use. The shell alone knows them all.
# Lowest first: a layer's libraries are defined after those it links.
set(ORVE_SUBSYSTEMS store app reference imports invoicing competitions accounting tools)
set(ORVE_LAYERS ${ORVE_SUBSYSTEMS} shell)

set(ORVE_ON_store "")
set(ORVE_ON_app store)
set(ORVE_ON_reference app)
set(ORVE_ON_imports app)
set(ORVE_ON_invoicing reference imports)
set(ORVE_ON_competitions invoicing)
set(ORVE_ON_accounting invoicing)
set(ORVE_ON_tools invoicing)
set(ORVE_ON_shell competitions accounting tools)

# Every layer below `layer`, nearest first.
function(orve_layers_below layer out)
  set(found)
  set(pending ${ORVE_ON_${layer}})
  while(pending)
    list(POP_FRONT pending next)
    if(NOT next IN_LIST found)
      list(APPEND found ${next})
      list(APPEND pending ${ORVE_ON_${next}})
    endif()
  endwhile()
  set(${out} ${found} PARENT_SCOPE)
endfunction()

# Reads every quoted or bracketed include of src/<layer>/ and src/<layer>/ui/
# that names one of the layers' folders. Rules may include their own folder and
# the rules of the layers below; screens may also include the screens of their
# own folder and of the layers below. Stops on the first pass with every
# offending line listed.
function(orve_check_layers source_dir)
  set(problems)
  foreach(layer ${ORVE_LAYERS})
    orve_layers_below(${layer} below)
    set(allowed ${layer} ${below})
    string(REPLACE ";" ", " allowed_text "${allowed}")
    foreach(kind rules screens)
      if(kind STREQUAL "rules")
        set(folder ${source_dir}/src/${layer})
      else()
        set(folder ${source_dir}/src/${layer}/ui)
      endif()
      file(GLOB files ${folder}/*.h ${folder}/*.cpp)
      foreach(file ${files})
        file(STRINGS ${file} lines REGEX "^[ \t]*#[ \t]*include[ \t]*[\"<][a-z_]+/")
        foreach(line ${lines})
          if(NOT line MATCHES "include[ \t]*[\"<](([a-z_]+)/([^\">]*))[\">]")
            continue()
          endif()
          set(target ${CMAKE_MATCH_1})
          set(target_layer ${CMAKE_MATCH_2})
          set(rest ${CMAKE_MATCH_3})
          if(NOT target_layer IN_LIST ORVE_LAYERS)
            continue()
          endif()
          file(RELATIVE_PATH shown ${source_dir} ${file})
          if(NOT target_layer IN_LIST allowed)
            list(APPEND problems
                 "  ${shown} includes \"${target}\": ${layer} may include only ${allowed_text}")
          elseif(kind STREQUAL "rules" AND rest MATCHES "^ui/")
            list(APPEND problems
                 "  ${shown} includes \"${target}\": rules never include screens, only src/${layer}/ui/ may")
          endif()
        endforeach()
      endforeach()
    endforeach()
  endforeach()
  if(problems)
    string(REPLACE ";" "\n" problems_text "${problems}")
    message(FATAL_ERROR
            "An include runs against the layers of src/ "
            "(store < app < reference, imports < invoicing < competitions, accounting, tools < shell):\n"
            "${problems_text}\n"
            "Move what is needed down to the layer that owns it, or change the table in "
            "cmake/OrveLayers.cmake if the dependency is genuinely right.")
  endif()
endfunction()
