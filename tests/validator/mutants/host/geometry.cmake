# Faults of geometry.

add_host_mutant(centre-halves-all
  SOURCE services.cpp
  REPLACE [[rect.x + rect.width / 2,]]
  BY [[(rect.x + rect.width) / 2,]]
  CAUGHT_BY geometry.centre)

add_host_mutant(width-without-sign
  SOURCE services.cpp
  REPLACE [[    return rect.width;]]
  BY [[    return rect.width < 0 ? -rect.width : rect.width;]]
  CAUGHT_BY geometry.sides)

add_host_mutant(nothing-is-inside
  SOURCE services.cpp
  REPLACE [[    return rect.x <= point.x &&]]
  BY [[    return false && rect.x <= point.x &&]]
  CAUGHT_BY geometry.point-inside)

add_host_mutant(left-edge-outside
  SOURCE services.cpp
  REPLACE [[return rect.x <= point.x &&]]
  BY [[return rect.x < point.x &&]]
  CAUGHT_BY geometry.edges-are-inside geometry.corners-are-inside)

add_host_mutant(corner-outside
  SOURCE services.cpp
  REPLACE [[    return rect.x <= point.x &&]]
  BY [[    return (rect.x != point.x || rect.y != point.y) && rect.x <= point.x &&]]
  CAUGHT_BY geometry.corners-are-inside geometry.rectangles-without-area)

add_host_mutant(edges-with-tolerance
  SOURCE services.cpp
  REPLACE [[           point.y <= rect.y + rect.height;]]
  BY [[           point.y <= rect.y + rect.height + 1e-9;]]
  CAUGHT_BY geometry.beyond-is-outside geometry.edges-are-sums)

add_host_mutant(edges-by-differences
  SOURCE services.cpp
  REPLACE [[point.x <= rect.x + rect.width &&]]
  BY [[point.x - rect.x <= rect.width &&]]
  CAUGHT_BY geometry.edges-are-sums)

add_host_mutant(inside-unless-outside
  SOURCE services.cpp
  REPLACE [[    return rect.x <= point.x && point.x <= rect.x + rect.width && rect.y <= point.y &&
           point.y <= rect.y + rect.height;]]
  BY [[    return !(point.x < rect.x || point.x > rect.x + rect.width || point.y < rect.y ||
             point.y > rect.y + rect.height);]]
  CAUGHT_BY geometry.nan-is-never-inside)
