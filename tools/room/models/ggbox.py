"""The Game Gear's box."""
import os
import sys

import model
sys.path.append(os.path.join(model.HERE, 'art'))
from boxes import case

case('ggbox', (72, 100, 10), (0.13, 0.13, 0.15))
