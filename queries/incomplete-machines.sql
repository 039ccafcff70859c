-- Which machines are not completely known?
--
-- The newest collection of each machine that lacks something, with the number of classes that are not complete. The
-- second answer names the classes and the reasons. A class that other machines have, and this one's plugins do not
-- know, counts.

WITH latest AS (SELECT h.name AS machine, r.* FROM host h JOIN run r ON r.id =
    (SELECT max(n.id) FROM run n WHERE n.host_id = h.id AND n.collected_at = h.last_seen)),
  unknown AS (SELECT l.id AS run_id, c.class FROM latest l CROSS JOIN (SELECT DISTINCT class FROM class_state) c
    EXCEPT SELECT run_id, class FROM class_state),
  gap AS (SELECT run_id, class FROM class_state WHERE state <> 'complete' UNION ALL SELECT run_id, class FROM unknown)
SELECT l.machine, l.collected_at, l.superuser, l.state, l.reason, count(g.class) AS classes
FROM latest l LEFT JOIN gap g ON g.run_id = l.id
WHERE coalesce(l.state, '') <> 'complete' OR g.class IS NOT NULL
GROUP BY l.id, l.machine, l.collected_at, l.superuser, l.state, l.reason
ORDER BY classes DESC, l.machine;

WITH latest AS (SELECT h.name AS machine, r.* FROM host h JOIN run r ON r.id =
    (SELECT max(n.id) FROM run n WHERE n.host_id = h.id AND n.collected_at = h.last_seen)),
  unknown AS (SELECT l.id AS run_id, c.class FROM latest l CROSS JOIN (SELECT DISTINCT class FROM class_state) c
    EXCEPT SELECT run_id, class FROM class_state),
  gap AS (SELECT run_id, class, state, reason FROM class_state WHERE state <> 'complete'
    UNION ALL SELECT run_id, class, 'not known to its plugins', NULL FROM unknown)
SELECT l.machine, g.class, g.state, g.reason
FROM latest l JOIN gap g ON g.run_id = l.id
ORDER BY l.machine, g.class;
