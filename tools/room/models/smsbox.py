"""The Master System's box."""
import os
import sys

import model
sys.path.append(os.path.join(model.HERE, 'art'))
from boxes import case

case('smsbox', (72, 103, 11), (0.16, 0.16, 0.18))
