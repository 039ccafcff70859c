-- Which network adapters have no link?
--
-- Adapters that are no mere software. "no link": switched on, without a carrier. "switched off": whether a cable is
-- plugged in cannot be seen. "not known": the carrier could not be read; the reason says why.

WITH latest AS (SELECT h.name AS machine, r.* FROM host h JOIN run r ON r.id =
    (SELECT max(n.id) FROM run n WHERE n.host_id = h.id AND n.collected_at = h.last_seen))
SELECT l.machine, a.name, a.driver, a.link_state, a.permanent_address,
  CASE WHEN a.carrier IS FALSE THEN 'no link' WHEN a.enabled IS FALSE THEN 'switched off'
    ELSE 'not known' END AS answer,
  m.reason
FROM latest l JOIN network_adapter a ON a.run_id = l.id
  LEFT JOIN missing m ON m.run_id = a.run_id AND m.table_name = 'network_adapter' AND m.row_id = a.id
    AND m.column_name = 'carrier'
WHERE a.virtual IS NOT TRUE AND a.carrier IS NOT TRUE
ORDER BY answer, l.machine, a.name;

-- For these machines that is not the whole truth.
WITH asked(class) AS (VALUES ('MOLTA_NetworkAdapter')),
  latest AS (SELECT h.name AS machine, r.* FROM host h JOIN run r ON r.id =
    (SELECT max(n.id) FROM run n WHERE n.host_id = h.id AND n.collected_at = h.last_seen))
SELECT l.machine, a.class,
  CASE s.state WHEN 'complete' THEN l.state ELSE coalesce(s.state, 'not known to its plugins') END AS state,
  coalesce(s.reason, l.reason) AS reason
FROM latest l CROSS JOIN asked a LEFT JOIN class_state s ON s.run_id = l.id AND s.class = a.class
WHERE coalesce(s.state, '') <> 'complete' OR l.reason_code IN ('file changed', 'instances lost', 'interrupted')
ORDER BY l.machine, a.class;
