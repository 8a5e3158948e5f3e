"""make_recipes.py PRESET FOLDER: the chain of a preset in the other forms that a recipe may have."""

import plistlib
import sys

with open(sys.argv[1], "rb") as file:
    preset = plistlib.load(file)
steps = preset["compositeAction"]
droplet = {"Host Application Settings": {"composite action": steps, "global settings": {"processSubfolders": 1}}}
for name, content, form in (("preset.binary", preset, plistlib.FMT_BINARY),
                            ("steps.plist", steps, plistlib.FMT_XML),
                            ("droplet.plist", droplet, plistlib.FMT_XML)):
    with open(f"{sys.argv[2]}/{name}", "wb") as file:
        plistlib.dump(content, file, fmt=form)
