"""The site of these pages: see script/docs, which stages them, adds the reference and builds."""

from pygments.lexers.dotnet import VbNetLexer
from pygments.lexers.javascript import JavascriptLexer

project = "Tarn Link Objects"
extensions = ["myst_parser"]
source_suffix = {".md": "markdown"}
exclude_patterns = ["_build"]

# Quotes are part of what a reader has to type.
smartquotes = False

# Anchors as repository browsers make them of headings
myst_heading_anchors = 4

html_theme = "furo"
html_copy_source = False
html_show_sourcelink = False
html_show_copyright = False
html_show_sphinx = False
html_last_updated_fmt = None
# A page that is read from a disk can't fetch others for the lines around a hit.
html_show_search_summary = False
html_static_path = ["site"]
html_css_files = ["site.css"]

# Programs of a dialect that a lexer doesn't know in full are shown all the same.
suppress_warnings = ["misc.highlighting_failure"]


# Debian's build of the theme has a script that only its makers' tools can join with what it imports.
def leave_out_broken_script(app, page, template, context, doctree):
    context["script_files"] = [name for name in context["script_files"] if "furo.js" not in str(name)]


def setup(app):
    for name in ("vb", "vba", "vb6", "basic"):
        app.add_lexer(name, VbNetLexer)
    app.add_lexer("jscript", JavascriptLexer)
    app.connect("html-page-context", leave_out_broken_script, priority=900)
