name(refgrove).
version('1.0.0').
title('Fast queries on a citation database of scientific documents').
keywords([citations, bibliography, documents]).
author('refgrove developers', '').
