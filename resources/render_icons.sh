#!/bin/sh
# Renders icons/svg/*.svg to PNG at 1x and 2x, the program's own icon at the usual sizes, and
# writes images.qrc.
# Needs rsvg-convert (package librsvg2-bin). Run it after an icon was drawn or changed; what it
# makes is checked in, so that building needs no renderer.
set -eu
cd "$(dirname "$0")"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# render NAME SOURCE [STYLE]: icons/png/NAME.png and NAME@2x.png.
render() {
    printf '%s\n' "${3:-}" >"$work/style.css"
    for scale in 1 2; do
        suffix=$([ "$scale" = 1 ] || echo "@${scale}x")
        rsvg-convert --zoom "$scale" --stylesheet "$work/style.css" \
            "icons/svg/$2.svg" -o "icons/png/$1$suffix.png"
    done
}

# pane_button NAME: the four looks of a button that hides or shows a pane. The plain and the white
# one say that the pane is hidden, the selected ones that it is shown (LB: light blue, dark theme).
pane_button() {
    render "$1" "$1" 'svg { color: #454b54 } .pane { fill: none }'
    render "$1_White" "$1" 'svg { color: #e6e9ee } .pane { fill: none }'
    render "$1_Selected" "$1" 'svg { color: #1f6fd0 } .pane { fill: #1f6fd0 }'
    render "$1_Selected_LB" "$1" 'svg { color: #6cb2ff } .pane { fill: #6cb2ff }'
}

for source in icons/svg/*.svg; do
    name=$(basename "$source" .svg)
    case $name in
        TB_Expand_*) pane_button "$name" ;;
        *) render "$name" "$name" ;;
    esac
done

for size in 16 32 64 128; do
    rsvg-convert -w "$size" -h "$size" desk/joinery-desk.svg -o "desk/joinery-desk-$size.png"
done

{
    printf '<!-- Written by render_icons.sh. -->\n<RCC>\n    <qresource prefix="/images">\n'
    for image in icons/png/*.png; do
        printf '        <file alias="%s">%s</file>\n' "$(basename "$image")" "$image"
    done
    printf '    </qresource>\n</RCC>\n'
} >images.qrc
